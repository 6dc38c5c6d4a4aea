/**
 * The command behind ./run. Its packages are layers, each of which uses only those before it: text, json,
 * tags, imagefile, request, image, check, run, model, judge, explain, compare, importer, catalogue, view,
 * cli. A run produces events and a folder, model.Run represents what it did, and the later layers present
 * that.
 */
package com.orlu.orlu3rdalgoservice.tool;
