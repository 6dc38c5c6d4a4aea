/** Text for people: mistakes with their places, suggestions, wrapping, and escaping of untrusted text. */
package com.orlu.orlu3rdalgoservice.tool.text;
