/** Image files: reads pixels of DNG, TIFF, PNG and JPEG files as their headers describe them. */
package com.orlu.orlu3rdalgoservice.tool.imagefile;
