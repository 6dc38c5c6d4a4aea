/** The command behind ./run. Its packages use each other one way: report uses image, image uses request. */
package com.orlu.orlu3rdalgoservice.tool;
