/** Makes request files from cameras' text dumps, an image test's JSON, pictures and their EXIF blocks. */
package com.orlu.orlu3rdalgoservice.tool.importer;
