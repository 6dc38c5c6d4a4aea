/** The events of a run (docs/events.md): writing those of the Java half, and reading all of them. */
package com.orlu.orlu3rdalgoservice.tool.events;
