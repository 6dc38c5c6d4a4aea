/**
 * The command behind ./run. Its packages are layers; each uses only those before it in this list: text, json,
 * tags, imagefile, request, image, check, run, model, judge, explain, compare, importer, catalogue, view,
 * cli. A run produces events and a folder, and model.Run represents them. judge judges a model.Run; explain,
 * compare, view and cli present it.
 */
package com.orlu.orlu3rdalgoservice.tool;
