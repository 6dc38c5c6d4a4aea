/**
 * Records requests of the service into folders. Of the platform, uses only public classes, and the hidden
 * SystemProperties for its settings.
 */
package com.orlu.orlu3rdalgoservice.record;
