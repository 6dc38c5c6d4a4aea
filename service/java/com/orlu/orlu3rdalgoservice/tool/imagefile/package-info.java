/** Reads the pixels of image files with headers: DNG, TIFF, PNG and JPEG. */
package com.orlu.orlu3rdalgoservice.tool.imagefile;
