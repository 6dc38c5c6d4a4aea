/**
 * Records requests of the service into folders. Uses one hidden class of the platform, SystemProperties, to
 * read the settings; all other platform classes are public.
 */
package com.orlu.orlu3rdalgoservice.record;
