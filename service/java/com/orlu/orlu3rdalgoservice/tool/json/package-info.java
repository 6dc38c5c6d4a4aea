/** JSON: a tree of values with their positions in the file, and its reader. */
package com.orlu.orlu3rdalgoservice.tool.json;
