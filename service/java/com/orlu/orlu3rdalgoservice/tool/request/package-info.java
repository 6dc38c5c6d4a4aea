/** Reads and checks request files, and represents the requests that they describe. */
package com.orlu.orlu3rdalgoservice.tool.request;
