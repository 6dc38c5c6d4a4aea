/** The verdict on a run, and what looks wrong in it. */
package com.orlu.orlu3rdalgoservice.tool.judge;
