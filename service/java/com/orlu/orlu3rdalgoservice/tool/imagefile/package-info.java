/** Image files with headers: reads the pixels of DNG, TIFF, PNG and JPEG files. */
package com.orlu.orlu3rdalgoservice.tool.imagefile;
