/** What the Java side adds to the events of the probe: every look-up in the stores, every value put. */
package com.orlu.orlu3rdalgoservice.tool.events;
