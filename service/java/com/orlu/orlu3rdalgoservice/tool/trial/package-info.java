/**
 * Finds by trial which tags a request's parameters depend on, over an algorithm library that answers at once.
 */
package com.orlu.orlu3rdalgoservice.tool.trial;
