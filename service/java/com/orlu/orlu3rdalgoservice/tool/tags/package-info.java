/** Facts about tags, parameters, algorithms and formats, and the formatting of their values. */
package com.orlu.orlu3rdalgoservice.tool.tags;
