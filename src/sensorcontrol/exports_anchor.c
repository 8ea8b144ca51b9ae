/* The shared library is made of the sensorcontrol_objects archive; a library
 * target needs at least one source of its own. */
