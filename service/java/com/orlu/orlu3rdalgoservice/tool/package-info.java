/**
 * The command behind ./run. Its packages use each other one way: explain uses report, report uses trial and
 * image, which use request.
 */
package com.orlu.orlu3rdalgoservice.tool;
