/** The catalogue: everything known about tags, algorithms, parameters, formats and samples. */
package com.orlu.orlu3rdalgoservice.tool.catalogue;
