/** JSON: a tree whose values know their place in the file, its reader, and a writer. */
package com.orlu.orlu3rdalgoservice.tool.json;
