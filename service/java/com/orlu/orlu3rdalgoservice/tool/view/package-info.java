/** Shows a run: summary, JSON, timeline, page. */
package com.orlu.orlu3rdalgoservice.tool.view;
