/** Reads recorded requests, cuts them down, and compares what two runs of one request did. */
package com.orlu.orlu3rdalgoservice.tool.recording;
