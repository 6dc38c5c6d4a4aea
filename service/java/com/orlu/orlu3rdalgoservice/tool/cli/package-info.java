/** The command line of ./run: its subcommands, and the run of a whole command line. */
package com.orlu.orlu3rdalgoservice.tool.cli;
