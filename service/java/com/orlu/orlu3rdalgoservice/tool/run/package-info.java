/** Runs a request through the native library, as the service does. */
package com.orlu.orlu3rdalgoservice.tool.run;
