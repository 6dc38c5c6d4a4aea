/** Whether a run went well, and if not, what the algorithm library did that it should not have. */
package com.orlu.orlu3rdalgoservice.tool.verdict;
