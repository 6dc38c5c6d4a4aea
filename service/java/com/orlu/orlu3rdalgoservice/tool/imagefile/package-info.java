/** Image files: pixels of DNG, TIFF, PNG and JPEG files as their own headers describe them. */
package com.orlu.orlu3rdalgoservice.tool.imagefile;
