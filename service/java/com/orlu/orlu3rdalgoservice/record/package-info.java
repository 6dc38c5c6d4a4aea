/** Records requests of the service into folders, with the platform's public classes alone. */
package com.orlu.orlu3rdalgoservice.record;
