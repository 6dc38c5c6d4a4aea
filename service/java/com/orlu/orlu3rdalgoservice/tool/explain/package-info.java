/** Explains, from events and trials, why a parameter has its value and how each tag was used. */
package com.orlu.orlu3rdalgoservice.tool.explain;
