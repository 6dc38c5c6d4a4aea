/** What every subcommand of ./run is made of: its row, its options, and the reading of its arguments. */
package com.orlu.orlu3rdalgoservice.tool.command;
