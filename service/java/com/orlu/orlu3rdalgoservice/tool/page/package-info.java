/** One page of HTML on each request (docs/report.md): pictures, memory, timeline, parameters, tags, log. */
package com.orlu.orlu3rdalgoservice.tool.page;
