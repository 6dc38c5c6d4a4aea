/** The command line of ./run: its subcommands, and the run of its requests. */
package com.orlu.orlu3rdalgoservice.tool.cli;
