/** The events of a run (docs/events.md) as a file that timeline viewers open (docs/timeline.md). */
package com.orlu.orlu3rdalgoservice.tool.timeline;
