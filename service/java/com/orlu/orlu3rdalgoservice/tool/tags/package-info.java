/** Forms of tag values and parameters. */
package com.orlu.orlu3rdalgoservice.tool.tags;
