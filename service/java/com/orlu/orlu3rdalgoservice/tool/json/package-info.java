/** A tree of JSON values with their positions in the file, and the reader that builds it. */
package com.orlu.orlu3rdalgoservice.tool.json;
