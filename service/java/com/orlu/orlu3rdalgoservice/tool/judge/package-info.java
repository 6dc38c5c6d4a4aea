/** The verdict on a run, and the problems found in it. */
package com.orlu.orlu3rdalgoservice.tool.judge;
