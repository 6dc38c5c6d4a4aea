/** What happened to a request, and the forms in which it is shown. */
package com.orlu.orlu3rdalgoservice.tool.report;
