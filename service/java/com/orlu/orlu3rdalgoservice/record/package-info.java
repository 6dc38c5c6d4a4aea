/** Records requests of the service into folders. Uses only public classes of the platform. */
package com.orlu.orlu3rdalgoservice.record;
