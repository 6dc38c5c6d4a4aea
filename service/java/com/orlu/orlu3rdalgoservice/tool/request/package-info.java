/** Request files: reads and checks them, and represents the requests that they describe. */
package com.orlu.orlu3rdalgoservice.tool.request;
