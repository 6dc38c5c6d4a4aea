/** Why a parameter is what it is, and what became of each tag: from events and trials, for people. */
package com.orlu.orlu3rdalgoservice.tool.explain;
