/** Works with pixels: makes frames from photos, fills image memory, reads and compares outputs. */
package com.orlu.orlu3rdalgoservice.tool.image;
