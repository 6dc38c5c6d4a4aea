/** Compares two runs. */
package com.orlu.orlu3rdalgoservice.tool.compare;
