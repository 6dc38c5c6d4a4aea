/** Request files: reading, checking, and what they describe. */
package com.orlu.orlu3rdalgoservice.tool.request;
