/** Pixels: frames made of a photo, image memory, and what an output holds. */
package com.orlu.orlu3rdalgoservice.tool.image;
