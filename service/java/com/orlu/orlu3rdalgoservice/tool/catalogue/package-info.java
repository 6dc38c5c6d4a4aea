/** The catalogue: what is known of tags, algorithms, parameters, formats and samples. */
package com.orlu.orlu3rdalgoservice.tool.catalogue;
