/** Explains, from events and trials, why a parameter has its value and what became of each tag. */
package com.orlu.orlu3rdalgoservice.tool.explain;
