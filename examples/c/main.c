/* A minimal host of libsensorcontrol in C: set up, list the connected
 * sensors, open the first, measure it, close it, tear down. Every response is
 * fetched in two steps: its length first, then its text. Exits 1 when the
 * library answers a status other than the one expected. */
#include <sensorcontrol/sensorcontrol.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

typedef uint32_t (*Endpoint)(char const* request, char const* parameters, char const* query,
                             char const* data);

/* Calls an endpoint and fetches its response. Returns the response text
 * (to be freed) when the status is the expected one, else prints it and
 * returns NULL. */
static char* Call(char const* what, Endpoint endpoint, char const* request, char const* parameters,
                  char const* query, uint32_t expected) {
    uint32_t const id = endpoint(request, parameters, query, "");
    uint32_t length = 0;
    uint32_t status = BridgeHelperGetResponse(id, NULL, &length); /* length counts the closing zero */
    char* text = length > 0 ? calloc(length, 1) : NULL;
    if (text != NULL) status = BridgeHelperGetResponse(id, text, &length); /* also frees the entry */
    printf("%s: %u %s\n", what, (unsigned)status, text != NULL ? text : "(no response)");
    if (status != expected || text == NULL) {
        free(text);
        return NULL;
    }
    return text;
}

/* The text of the first string member "key" in a JSON text; a real host
 * would use a JSON parser. */
static int StringMember(char const* json, char const* key, char* out, size_t size) {
    char pattern[64];
    snprintf(pattern, sizeof pattern, "\"%s\":\"", key);
    char const* start = strstr(json, pattern);
    if (start == NULL) return 0;
    start += strlen(pattern);
    char const* end = strchr(start, '"');
    if (end == NULL || (size_t)(end - start) >= size) return 0;
    memcpy(out, start, (size_t)(end - start));
    out[end - start] = '\0';
    return 1;
}

int main(void) {
    int failed = 1;
    char parameters[128];
    char sensorID[64];
    Setup();

    char* sensors =
        Call("connected sensors", Sensors, "{\"method\":\"GET\"}", "", "{\"connected\":true}", 200);
    if (sensors == NULL) goto done;
    char const* first = strstr(sensors, "\"deviceID\":");
    if (first == NULL) {
        printf("no sensor connected\n");
        failed = 0;
        free(sensors);
        goto done;
    }
    snprintf(parameters, sizeof parameters, "{\"deviceID\":%ld}",
             strtol(first + strlen("\"deviceID\":"), NULL, 10));
    free(sensors);

    char* opened = Call("open", DeviceID, "{\"method\":\"POST\"}", parameters, "", 200);
    if (opened == NULL) goto done;
    int const haveID = StringMember(opened, "value", sensorID, sizeof sensorID);
    free(opened);
    if (!haveID) goto done;
    snprintf(parameters, sizeof parameters, "{\"id\":\"%s\"}", sensorID);

    char* xyz = Call("measure", SensorXYZ, "{\"method\":\"GET\"}", parameters, "", 200);
    if (xyz == NULL) goto done;
    free(xyz);
    char* closed = Call("close", Sensor, "{\"method\":\"DELETE\"}", parameters, "", 200);
    if (closed == NULL) goto done;
    free(closed);
    failed = 0;

done:
    TearDown();
    return failed;
}
