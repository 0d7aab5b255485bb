/* isptune-sim scenario reading: a YAML file (libyaml) into a checked scenario, errors with their line. */
#include <errno.h>
#include <math.h>
#include <stdarg.h>
#include <stdlib.h>
#include <string.h>
#include <yaml.h>

#include "isptune_sim.h"
#include "platform/host.h"

/* ---- names ------------------------------------------------------------------------------------------- */

static const struct {
    const char *name;
    int pos;
} k_sysinfo_fields[] = {
#define F(n) {#n, SYSINFO_##n}
    F(u8Brightness), F(u8Contrast), F(u8Saturation), F(u8Sharpness), F(u8ManualGain), F(u8WbMode),
    F(u8WbRed), F(u8WbGreen), F(u8WbBlue), F(u8BlcEnable), F(u8BlcLevel), F(u8FlickerMode),
    F(u8WatchedMode), F(u8Shutter), F(u8ExposureMode), F(u8WdrMode), F(u8WdrLevel), F(u8DnrMode),
    F(u8Dnr2dStrength), F(u8Dnr3dStrength), F(u8DefogMode), F(u8DefogReserved), F(u8DefogStrength),
    F(u8SlInhibitionEnable), F(u8SlInhibitionLevel), F(u8SlDrcStrength),
#undef F
};
enum { SYSINFO_FIELD_COUNT = sizeof k_sysinfo_fields / sizeof k_sysinfo_fields[0] };

const char *const k_operation_names[ISP_OPERATION_COUNT] = {
    "QV_ISP_Start", "QV_ISP_Stop", "set_exposure", "set_awb", "set_wdr", "set_blc", "set_flcker", "set_dnr",
    "set_iris", "set_defog", "set_sharpness", "set_brightness", "set_Contrast", "set_Saturation",
    "set_SLInhibition", "get_config",
};

int sysinfo_position(const char *name)
{
    for (int i = 0; i < SYSINFO_FIELD_COUNT; i++)
        if (strcmp(k_sysinfo_fields[i].name, name) == 0) return k_sysinfo_fields[i].pos;
    return -1;
}

const char *sysinfo_name(int pos)
{
    for (int i = 0; i < SYSINFO_FIELD_COUNT; i++)
        if (k_sysinfo_fields[i].pos == pos) return k_sysinfo_fields[i].name;
    return "?";
}

int operation_slot(const char *name)
{
    for (int i = 0; i < ISP_OPERATION_COUNT; i++)
        if (strcmp(k_operation_names[i], name) == 0) return i;
    return -1;
}

void format_clock(double seconds, char *buf, size_t len)
{
    long s = (long)floor(seconds + 1e-9);
    snprintf(buf, len, "%02ld:%02ld:%02ld", s / 3600, s / 60 % 60, s % 60);
}

/* ---- the reader ---------------------------------------------------------------------------------------- */

typedef struct {
    yaml_document_t *doc;
    const char *path;
    char *err;
    size_t errlen;
} reader;

/* Format "FILE:LINE: reason" for the node and return -1. */
static int fail_at(reader *r, const yaml_node_t *node, const char *fmt, ...)
{
    char reason[512];
    va_list ap;
    va_start(ap, fmt);
    vsnprintf(reason, sizeof reason, fmt, ap);
    va_end(ap);
    snprintf(r->err, r->errlen, "%s:%lu: %s", r->path, node ? (unsigned long)node->start_mark.line + 1 : 1UL,
             reason);
    return -1;
}

static const char *scalar(const yaml_node_t *n)
{
    return n->type == YAML_SCALAR_NODE ? (const char *)n->data.scalar.value : NULL;
}

static const char *node_kind(const yaml_node_t *n)
{
    return n->type == YAML_SCALAR_NODE ? "a value" : n->type == YAML_SEQUENCE_NODE ? "a list" : "a mapping";
}

static int want_scalar(reader *r, const yaml_node_t *n, const char *key)
{
    if (n->type != YAML_SCALAR_NODE) return fail_at(r, n, "%s: expected a value, found %s", key, node_kind(n));
    return 0;
}

static int get_number(reader *r, const yaml_node_t *n, const char *key, double lo, double hi, double *out)
{
    if (want_scalar(r, n, key)) return -1;
    const char *s = scalar(n);
    char *end;
    errno = 0;
    double v = strtod(s, &end);
    if (end == s || *end != '\0' || errno != 0 || !isfinite(v))
        return fail_at(r, n, "%s: '%s' is not a number", key, s);
    if (v < lo || v > hi) return fail_at(r, n, "%s: %s is outside %g .. %g", key, s, lo, hi);
    *out = v;
    return 0;
}

static int get_byte(reader *r, const yaml_node_t *n, const char *key, uint8_t *out)
{
    double v;
    if (get_number(r, n, key, 0, 255, &v)) return -1;
    if (v != floor(v)) return fail_at(r, n, "%s: %s is not a whole number 0 .. 255", key, scalar(n));
    *out = (uint8_t)v;
    return 0;
}

/* "HH:MM" or "HH:MM:SS"; hours up to max_hours. */
static int get_clock(reader *r, const yaml_node_t *n, const char *key, int max_hours, double *out)
{
    if (want_scalar(r, n, key)) return -1;
    const char *s = scalar(n);
    unsigned h = 0, m = 0, sec = 0;
    int used = 0;
    int ok = s[0] >= '0' && s[0] <= '9' &&
             ((sscanf(s, "%u:%u%n", &h, &m, &used) == 2 && s[used] == '\0') ||
              (sscanf(s, "%u:%u:%u%n", &h, &m, &sec, &used) == 3 && s[used] == '\0'));
    if (!ok || m > 59 || sec > 59) return fail_at(r, n, "%s: '%s' is not a time (use HH:MM or HH:MM:SS)", key, s);
    double v = h * 3600.0 + m * 60.0 + sec;
    if (v > max_hours * 3600.0) return fail_at(r, n, "%s: '%s' is later than %d:00", key, s, max_hours);
    *out = v;
    return 0;
}

/* "90s", "10m", "2h", "1d", a plain number of seconds, or HH:MM[:SS]. */
static int get_duration(reader *r, const yaml_node_t *n, const char *key, double lo, double hi, double *out)
{
    if (want_scalar(r, n, key)) return -1;
    const char *s = scalar(n);
    if (strchr(s, ':') != NULL) return get_clock(r, n, key, (int)(hi / 3600.0), out);
    char *end;
    double v = strtod(s, &end);
    double unit = 1.0;
    if (end == s) return fail_at(r, n, "%s: '%s' is not a duration (use 30s, 10m, 2h or 1d)", key, s);
    if (*end == 's') unit = 1.0, end++;
    else if (*end == 'm') unit = 60.0, end++;
    else if (*end == 'h') unit = 3600.0, end++;
    else if (*end == 'd') unit = 86400.0, end++;
    if (*end != '\0' || !isfinite(v))
        return fail_at(r, n, "%s: '%s' is not a duration (use 30s, 10m, 2h or 1d)", key, s);
    v *= unit;
    if (v < lo || v > hi) return fail_at(r, n, "%s: '%s' is outside %gs .. %gs", key, s, lo, hi);
    *out = v;
    return 0;
}

static int get_text(reader *r, const yaml_node_t *n, const char *key, char *buf, size_t len)
{
    if (want_scalar(r, n, key)) return -1;
    const char *s = scalar(n);
    if (strlen(s) >= len) return fail_at(r, n, "%s: longer than %zu characters", key, len - 1);
    snprintf(buf, len, "%s", s);
    return 0;
}

static int get_bool(reader *r, const yaml_node_t *n, const char *key, int *out)
{
    if (want_scalar(r, n, key)) return -1;
    const char *s = scalar(n);
    if (!strcmp(s, "true") || !strcmp(s, "yes") || !strcmp(s, "on") || !strcmp(s, "1")) *out = 1;
    else if (!strcmp(s, "false") || !strcmp(s, "no") || !strcmp(s, "off") || !strcmp(s, "0")) *out = 0;
    else return fail_at(r, n, "%s: '%s' is not true or false", key, s);
    return 0;
}

/* Iterate a mapping: each pair's key text and value node. */
#define FOR_PAIRS(r, map, keytext, keynode, value)                                                          \
    for (yaml_node_pair_t *pair_##keytext = (map)->data.mapping.pairs.start;                                 \
         pair_##keytext < (map)->data.mapping.pairs.top; pair_##keytext++)                                   \
        for (yaml_node_t *keynode = yaml_document_get_node((r)->doc, pair_##keytext->key),                  \
                         *value = yaml_document_get_node((r)->doc, pair_##keytext->value);                  \
             keynode != NULL; keynode = NULL)                                                                \
            for (const char *keytext = scalar(keynode) ? scalar(keynode) : ""; keytext != NULL; keytext = NULL)

#define FOR_ITEMS(r, seq, item)                                                                              \
    for (yaml_node_item_t *it_##item = (seq)->data.sequence.items.start;                                     \
         it_##item < (seq)->data.sequence.items.top; it_##item++)                                            \
        for (yaml_node_t *item = yaml_document_get_node((r)->doc, *it_##item); item != NULL; item = NULL)

static int want_mapping(reader *r, const yaml_node_t *n, const char *what)
{
    if (n->type != YAML_MAPPING_NODE) return fail_at(r, n, "%s: expected a mapping (key: value lines), found %s",
                                                     what, node_kind(n));
    return 0;
}

static int want_sequence(reader *r, const yaml_node_t *n, const char *what)
{
    if (n->type != YAML_SEQUENCE_NODE) return fail_at(r, n, "%s: expected a list (lines starting with -), found %s",
                                                      what, node_kind(n));
    return 0;
}

static int unknown_key(reader *r, const yaml_node_t *key, const char *where, const char *known)
{
    return fail_at(r, key, "unknown key '%s' in %s (known: %s)", scalar(key) ? scalar(key) : "?", where, known);
}

static int read_scene(reader *r, yaml_node_t *seq, scenario *sc)
{
    if (want_sequence(r, seq, "scene")) return -1;
    FOR_ITEMS(r, seq, item) {
        if (want_mapping(r, item, "scene point")) return -1;
        if (sc->nkeys == SC_MAX_KEYS) return fail_at(r, item, "scene: more than %d points", SC_MAX_KEYS);
        scene_key *k = &sc->keys[sc->nkeys];
        int have_at = 0, have_lux = 0;
        FOR_PAIRS(r, item, key, knode, value) {
            if (!strcmp(key, "at")) {
                if (get_clock(r, value, "scene: at", 24, &k->at)) return -1;
                have_at = 1;
            } else if (!strcmp(key, "lux")) {
                if (get_number(r, value, "scene: lux", 0.0, 200000.0, &k->lux)) return -1;
                have_lux = 1;
            } else {
                return unknown_key(r, knode, "a scene point", "at, lux");
            }
        }
        if (!have_at || !have_lux) return fail_at(r, item, "scene point: needs both 'at' and 'lux'");
        if (sc->nkeys > 0 && k->at <= sc->keys[sc->nkeys - 1].at)
            return fail_at(r, item, "scene: points must be in increasing time order");
        sc->nkeys++;
    }
    if (sc->nkeys == 0) return fail_at(r, seq, "scene: needs at least one point");
    return 0;
}

static int read_clouds(reader *r, yaml_node_t *seq, scenario *sc)
{
    if (want_sequence(r, seq, "clouds")) return -1;
    FOR_ITEMS(r, seq, item) {
        if (want_mapping(r, item, "cloud")) return -1;
        if (sc->nclouds == SC_MAX_CLOUDS) return fail_at(r, item, "clouds: more than %d", SC_MAX_CLOUDS);
        cloud *c = &sc->clouds[sc->nclouds];
        c->ramp = 60.0;
        int have = 0;
        FOR_PAIRS(r, item, key, knode, value) {
            if (!strcmp(key, "from")) {
                if (get_clock(r, value, "cloud: from", 24 * 7, &c->from)) return -1;
                have |= 1;
            } else if (!strcmp(key, "to")) {
                if (get_clock(r, value, "cloud: to", 24 * 7, &c->to)) return -1;
                have |= 2;
            } else if (!strcmp(key, "factor")) {
                if (get_number(r, value, "cloud: factor", 0.0001, 100.0, &c->factor)) return -1;
                have |= 4;
            } else if (!strcmp(key, "ramp")) {
                if (get_duration(r, value, "cloud: ramp", 0.0, 86400.0, &c->ramp)) return -1;
            } else {
                return unknown_key(r, knode, "a cloud", "from, to, factor, ramp");
            }
        }
        if (have != 7) return fail_at(r, item, "cloud: needs 'from', 'to' and 'factor'");
        if (c->to <= c->from) return fail_at(r, item, "cloud: 'to' must be later than 'from'");
        sc->nclouds++;
    }
    return 0;
}

static int read_camera(reader *r, yaml_node_t *map, scenario *sc)
{
    if (want_mapping(r, map, "camera")) return -1;
    FOR_PAIRS(r, map, key, knode, value) {
        if (!strcmp(key, "unity_lux")) {
            if (get_number(r, value, "camera: unity_lux", 0.001, 100000.0, &sc->unity_lux)) return -1;
        } else if (!strcmp(key, "lamp_lux")) {
            if (get_number(r, value, "camera: lamp_lux", 0.0, 100000.0, &sc->lamp_lux)) return -1;
        } else if (!strcmp(key, "ir_boost")) {
            if (get_number(r, value, "camera: ir_boost", 0.01, 100.0, &sc->ir_boost)) return -1;
        } else if (!strcmp(key, "sensor_leak")) {
            if (get_number(r, value, "camera: sensor_leak", 0.0, 1.0, &sc->sensor_leak)) return -1;
        } else {
            return unknown_key(r, knode, "camera", "unity_lux, lamp_lux, ir_boost, sensor_leak");
        }
    }
    return 0;
}

static int read_daynight(reader *r, yaml_node_t *map, scenario *sc)
{
    if (want_mapping(r, map, "daynight")) return -1;
    double night_below = -1, day_above = -1, night_above = -1, day_below = -1;
    const yaml_node_t *rule_node = map;
    FOR_PAIRS(r, map, key, knode, value) {
        if (!strcmp(key, "rule")) {
            if (want_scalar(r, value, "daynight: rule")) return -1;
            rule_node = value;
            if (!strcmp(scalar(value), "sensor")) sc->rule = DN_SENSOR;
            else if (!strcmp(scalar(value), "gain")) sc->rule = DN_GAIN;
            else return fail_at(r, value, "daynight: rule: '%s' is not sensor or gain", scalar(value));
        } else if (!strcmp(key, "night_below")) {
            if (get_number(r, value, "daynight: night_below", 0.0, 200000.0, &night_below)) return -1;
        } else if (!strcmp(key, "day_above")) {
            if (get_number(r, value, "daynight: day_above", 0.0, 200000.0, &day_above)) return -1;
        } else if (!strcmp(key, "night_above")) {
            if (get_number(r, value, "daynight: night_above", 1.0, 1000.0, &night_above)) return -1;
        } else if (!strcmp(key, "day_below")) {
            if (get_number(r, value, "daynight: day_below", 1.0, 1000.0, &day_below)) return -1;
        } else if (!strcmp(key, "dwell")) {
            if (get_duration(r, value, "daynight: dwell", 0.0, 86400.0, &sc->dwell)) return -1;
        } else {
            return unknown_key(r, knode, "daynight", "rule, night_below, day_above, night_above, day_below, dwell");
        }
    }
    if (sc->rule == DN_SENSOR) {
        if (night_above >= 0 || day_below >= 0)
            return fail_at(r, rule_node, "daynight: the sensor rule takes night_below and day_above (lux)");
        if (night_below >= 0) sc->night_threshold = night_below;
        if (day_above >= 0) sc->day_threshold = day_above;
        if (sc->day_threshold <= sc->night_threshold)
            return fail_at(r, map, "daynight: day_above (%g) must be above night_below (%g)", sc->day_threshold,
                           sc->night_threshold);
    } else {
        if (night_below >= 0 || day_above >= 0)
            return fail_at(r, rule_node, "daynight: the gain rule takes night_above and day_below (gain)");
        if (night_above < 0 || day_below < 0)
            return fail_at(r, rule_node, "daynight: the gain rule needs night_above and day_below");
        sc->night_threshold = night_above;
        sc->day_threshold = day_below;
        if (sc->day_threshold >= sc->night_threshold)
            return fail_at(r, map, "daynight: day_below (%g) must be below night_above (%g)", sc->day_threshold,
                           sc->night_threshold);
    }
    return 0;
}

static int read_sysinfo_map(reader *r, yaml_node_t *map, const char *where, sysinfo_set_item *items, int *count)
{
    if (want_mapping(r, map, where)) return -1;
    FOR_PAIRS(r, map, key, knode, value) {
        int pos = sysinfo_position(key);
        if (pos < 0)
            return fail_at(r, knode, "%s: '%s' is not a SysInfo field of Part 1.6 (u8WdrLevel, u8DnrMode, ...)",
                           where, key);
        if (*count == SC_MAX_SET) return fail_at(r, knode, "%s: more than %d fields", where, SC_MAX_SET);
        items[*count].pos = pos;
        if (get_byte(r, value, key, &items[*count].value)) return -1;
        (*count)++;
    }
    return 0;
}

static int read_apply_one(reader *r, yaml_node_t *n, action *a)
{
    if (want_scalar(r, n, "apply")) return -1;
    int slot = operation_slot(scalar(n));
    if (slot < 2)
        return fail_at(r, n, "apply: '%s' is not a set operation or get_config (set_exposure ... set_SLInhibition, "
                       "get_config)", scalar(n));
    if (a->napply == SC_MAX_APPLY) return fail_at(r, n, "apply: more than %d operations", SC_MAX_APPLY);
    a->apply[a->napply++] = slot;
    return 0;
}

static int read_fail(reader *r, yaml_node_t *map, action *a)
{
    if (want_mapping(r, map, "fail")) return -1;
    a->fail = 1;
    a->fail_times = 1;
    a->fail_code = 0xA01C8006u; /* HI_ERR_ISP_ILLEGAL_PARAM, a typical vendor code */
    int have_call = 0;
    FOR_PAIRS(r, map, key, knode, value) {
        if (!strcmp(key, "call")) {
            if (get_text(r, value, "fail: call", a->fail_call, sizeof a->fail_call)) return -1;
            if (strncmp(a->fail_call, "HI_MPI_", 7) != 0)
                return fail_at(r, value, "fail: call: '%s' is not an HI_MPI_ call", a->fail_call);
            have_call = 1;
        } else if (!strcmp(key, "times")) {
            double v;
            if (get_number(r, value, "fail: times", 1, 1000000, &v)) return -1;
            a->fail_times = (int)v;
        } else if (!strcmp(key, "code")) {
            if (want_scalar(r, value, "fail: code")) return -1;
            char *end;
            unsigned long v = strtoul(scalar(value), &end, 0);
            if (*end != '\0' || v == 0 || v > 0xFFFFFFFFul)
                return fail_at(r, value, "fail: code: '%s' is not a non-zero 32-bit code", scalar(value));
            a->fail_code = (uint32_t)v;
        } else {
            return unknown_key(r, knode, "fail", "call, times, code");
        }
    }
    if (!have_call) return fail_at(r, map, "fail: needs 'call' (the HI_MPI_ function to fail)");
    return 0;
}

static int read_actions(reader *r, yaml_node_t *seq, scenario *sc)
{
    if (want_sequence(r, seq, "actions")) return -1;
    FOR_ITEMS(r, seq, item) {
        if (want_mapping(r, item, "action")) return -1;
        if (sc->nactions == SC_MAX_ACTIONS) return fail_at(r, item, "actions: more than %d", SC_MAX_ACTIONS);
        action *a = &sc->actions[sc->nactions];
        memset(a, 0, sizeof *a);
        a->line = (int)item->start_mark.line + 1;
        a->profile = -1;
        a->daynight = FORCE_NONE;
        int have_at = 0, does = 0;
        FOR_PAIRS(r, item, key, knode, value) {
            if (!strcmp(key, "at")) {
                if (get_clock(r, value, "action: at", 24 * 7, &a->at)) return -1;
                have_at = 1;
            } else if (!strcmp(key, "set")) {
                if (read_sysinfo_map(r, value, "set", a->set, &a->nset)) return -1;
                does = 1;
            } else if (!strcmp(key, "apply")) {
                if (value->type == YAML_SEQUENCE_NODE) {
                    FOR_ITEMS(r, value, op) if (read_apply_one(r, op, a)) return -1;
                } else if (read_apply_one(r, value, a)) {
                    return -1;
                }
                does = 1;
            } else if (!strcmp(key, "profile")) {
                if (want_scalar(r, value, "profile")) return -1;
                if (!strcmp(scalar(value), "day")) a->profile = 0;
                else if (!strcmp(scalar(value), "night")) a->profile = 1;
                else return fail_at(r, value, "profile: '%s' is not day or night", scalar(value));
                does = 1;
            } else if (!strcmp(key, "daynight")) {
                if (want_scalar(r, value, "daynight")) return -1;
                if (!strcmp(scalar(value), "auto")) a->daynight = FORCE_AUTO;
                else if (!strcmp(scalar(value), "day")) a->daynight = FORCE_DAY;
                else if (!strcmp(scalar(value), "night")) a->daynight = FORCE_NIGHT;
                else return fail_at(r, value, "daynight: '%s' is not auto, day or night", scalar(value));
                does = 1;
            } else if (!strcmp(key, "overlay")) {
                if (get_bool(r, value, "overlay", &a->overlay)) return -1;
                does = 1;
            } else if (!strcmp(key, "fail")) {
                if (read_fail(r, value, a)) return -1;
                does = 1;
            } else if (!strcmp(key, "note")) {
                if (get_text(r, value, "note", a->note, sizeof a->note)) return -1;
            } else {
                return unknown_key(r, knode, "an action", "at, set, apply, profile, daynight, overlay, fail, note");
            }
        }
        if (!have_at) return fail_at(r, item, "action: needs 'at' (the time it happens, HH:MM)");
        if (!does) return fail_at(r, item, "action: does nothing (give set, apply, profile, daynight, overlay or fail)");
        if (sc->nactions > 0 && a->at < sc->actions[sc->nactions - 1].at)
            return fail_at(r, item, "actions: must be in time order");
        sc->nactions++;
    }
    return 0;
}

static int read_checks(reader *r, yaml_node_t *map, scenario *sc)
{
    if (want_mapping(r, map, "checks")) return -1;
    FOR_PAIRS(r, map, key, knode, value) {
        if (!strcmp(key, "max_toggles_per_hour")) {
            if (get_number(r, value, "checks: max_toggles_per_hour", 0, 100000, &sc->max_toggles_per_hour))
                return -1;
        } else {
            return unknown_key(r, knode, "checks", "max_toggles_per_hour");
        }
    }
    return 0;
}

static void defaults(scenario *sc)
{
    memset(sc, 0, sizeof *sc);
    sc->duration = 86400.0;
    sc->unity_lux = 20.0;
    sc->lamp_lux = 1.0;
    sc->ir_boost = 1.5;
    sc->sensor_leak = 0.0;
    sc->rule = DN_SENSOR;
    sc->night_threshold = 2.0;
    sc->day_threshold = 8.0;
    sc->dwell = 60.0;
    sc->max_toggles_per_hour = 4.0;
}

static int read_root(reader *r, yaml_node_t *root, scenario *sc)
{
    if (root->type != YAML_MAPPING_NODE)
        return fail_at(r, root, "a scenario is a mapping (name:, scene:, ... lines), not %s", node_kind(root));
    int have_scene = 0;
    FOR_PAIRS(r, root, key, knode, value) {
        int rc = 0;
        if (!strcmp(key, "name")) rc = get_text(r, value, "name", sc->name, sizeof sc->name);
        else if (!strcmp(key, "description")) rc = get_text(r, value, "description", sc->description,
                                                            sizeof sc->description);
        else if (!strcmp(key, "start")) rc = get_clock(r, value, "start", 24, &sc->start);
        else if (!strcmp(key, "duration")) rc = get_duration(r, value, "duration", 60.0, 7 * 86400.0, &sc->duration);
        else if (!strcmp(key, "scene")) rc = read_scene(r, value, sc), have_scene = 1;
        else if (!strcmp(key, "clouds")) rc = read_clouds(r, value, sc);
        else if (!strcmp(key, "camera")) rc = read_camera(r, value, sc);
        else if (!strcmp(key, "daynight")) rc = read_daynight(r, value, sc);
        else if (!strcmp(key, "checks")) rc = read_checks(r, value, sc);
        else if (!strcmp(key, "sysinfo")) rc = read_sysinfo_map(r, value, "sysinfo", sc->sys, &sc->nsys);
        else if (!strcmp(key, "actions")) rc = read_actions(r, value, sc);
        else rc = unknown_key(r, knode, "the scenario",
                              "name, description, start, duration, scene, clouds, camera, daynight, checks, sysinfo, "
                              "actions");
        if (rc) return -1;
    }
    if (!have_scene) return fail_at(r, root, "the scenario has no 'scene' (the light over the day)");
    for (int i = 0; i < sc->nactions; i++)
        if (sc->actions[i].at < sc->start) {
            snprintf(r->err, r->errlen, "%s:%d: action at %02d:%02d is before the start of the run", r->path,
                     sc->actions[i].line, (int)(sc->actions[i].at / 3600), (int)fmod(sc->actions[i].at / 60, 60));
            return -1;
        }
    return 0;
}

int scenario_load(const char *path, scenario *sc, char *err, size_t errlen)
{
    defaults(sc);
    snprintf(sc->path, sizeof sc->path, "%s", path);
    FILE *f = fopen(path, "rb");
    if (f == NULL) {
        snprintf(err, errlen, "%s: %s", path, strerror(errno));
        return -1;
    }
    yaml_parser_t parser;
    yaml_document_t doc;
    if (!yaml_parser_initialize(&parser)) {
        fclose(f);
        snprintf(err, errlen, "%s: cannot start the YAML parser", path);
        return -1;
    }
    yaml_parser_set_input_file(&parser, f);
    int rc = -1;
    if (!yaml_parser_load(&parser, &doc)) {
        snprintf(err, errlen, "%s:%lu: %s%s%s", path, (unsigned long)parser.problem_mark.line + 1,
                 parser.problem ? parser.problem : "not valid YAML", parser.context ? " " : "",
                 parser.context ? parser.context : "");
    } else {
        yaml_node_t *root = yaml_document_get_root_node(&doc);
        reader r = {&doc, path, err, errlen};
        if (root == NULL) snprintf(err, errlen, "%s:1: the file is empty", path);
        else rc = read_root(&r, root, sc);
        yaml_document_delete(&doc);
    }
    yaml_parser_delete(&parser);
    fclose(f);
    if (rc == 0 && sc->name[0] == '\0') {
        /* The name defaults to the file's base name without its extension. */
        const char *base = strrchr(path, '/');
        base = base ? base + 1 : path;
        snprintf(sc->name, sizeof sc->name, "%s", base);
        char *dot = strrchr(sc->name, '.');
        if (dot != NULL && dot != sc->name) *dot = '\0';
    }
    return rc;
}
