/**
 * Text for people: errors and warnings with their positions in files, suggestions for mistyped words, tables,
 * wrapping, and escaping of untrusted text.
 */
package com.orlu.orlu3rdalgoservice.tool.text;
