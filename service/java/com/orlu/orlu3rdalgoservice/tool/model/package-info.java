/** What a run did: its events and its recording. */
package com.orlu.orlu3rdalgoservice.tool.model;
