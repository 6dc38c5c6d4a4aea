/** Records requests into folders. The only hidden platform class that it uses is SystemProperties. */
package com.orlu.orlu3rdalgoservice.record;
