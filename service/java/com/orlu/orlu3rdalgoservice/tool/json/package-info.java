/** JSON: a tree whose values know their place in the file, and its reader. */
package com.orlu.orlu3rdalgoservice.tool.json;
