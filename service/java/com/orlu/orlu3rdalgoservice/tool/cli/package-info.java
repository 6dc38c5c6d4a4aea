/** The command line of ./run: its options and subcommands, and the sessions that run requests. */
package com.orlu.orlu3rdalgoservice.tool.cli;
