/** Pixels: frames made from a photo, image memory, and the content of outputs. */
package com.orlu.orlu3rdalgoservice.tool.image;
