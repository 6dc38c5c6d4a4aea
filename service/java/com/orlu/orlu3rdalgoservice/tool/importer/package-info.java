/** Makes request files from the files of cameras: text dumps, an image test's JSON, EXIF blocks. */
package com.orlu.orlu3rdalgoservice.tool.importer;
