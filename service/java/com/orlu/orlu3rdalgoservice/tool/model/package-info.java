/** What a run did: its events, its recording, and what both say. */
package com.orlu.orlu3rdalgoservice.tool.model;
