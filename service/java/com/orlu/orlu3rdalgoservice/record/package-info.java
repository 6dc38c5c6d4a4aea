/**
 * Records requests of the service into folders. Uses only public classes of the platform, except the hidden
 * SystemProperties for its settings.
 */
package com.orlu.orlu3rdalgoservice.record;
