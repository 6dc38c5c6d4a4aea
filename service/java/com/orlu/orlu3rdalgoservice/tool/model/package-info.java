/** Represents runs: their events and recordings. */
package com.orlu.orlu3rdalgoservice.tool.model;
