/** Checks all request files of a command line before any of them runs. */
package com.orlu.orlu3rdalgoservice.tool.check;
