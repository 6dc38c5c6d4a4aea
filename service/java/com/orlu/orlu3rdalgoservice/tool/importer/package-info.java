/** Makes request files from cameras' text dumps, the JSON of an image test, and pictures with their EXIF. */
package com.orlu.orlu3rdalgoservice.tool.importer;
