/** Finds the problems of a run and forms the verdict on the run. */
package com.orlu.orlu3rdalgoservice.tool.judge;
