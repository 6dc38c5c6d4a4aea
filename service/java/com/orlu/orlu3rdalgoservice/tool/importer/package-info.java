/** Makes request files from what cameras write: text dumps, an image test's JSON, EXIF blocks. */
package com.orlu.orlu3rdalgoservice.tool.importer;
