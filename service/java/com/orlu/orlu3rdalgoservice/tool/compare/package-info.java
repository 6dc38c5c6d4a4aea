/** Compares two runs of a request. */
package com.orlu.orlu3rdalgoservice.tool.compare;
