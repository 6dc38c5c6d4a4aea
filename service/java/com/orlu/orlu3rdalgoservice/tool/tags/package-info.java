/** Facts of tags, parameters, algorithms and formats, and how their values are shown. */
package com.orlu.orlu3rdalgoservice.tool.tags;
