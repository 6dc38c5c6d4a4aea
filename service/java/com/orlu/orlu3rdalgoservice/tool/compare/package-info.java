/** Compares what two runs of a request did. */
package com.orlu.orlu3rdalgoservice.tool.compare;
