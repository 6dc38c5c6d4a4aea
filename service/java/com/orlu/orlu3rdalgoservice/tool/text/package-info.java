/** Text for people: mistakes with their places, suggestions, wrapping, and escaping of foreign text. */
package com.orlu.orlu3rdalgoservice.tool.text;
