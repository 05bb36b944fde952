-- The pulses of a fleet, and the views that answer what "vantor-inspect --fleet" answers. For PostgreSQL 15 and later; docs/fleet.md
-- tells how pulses get here. Times are UTC.

-- One row a pulse, its columns in the order of "vantor-inspect --fleet --csv".
CREATE TABLE pulse (
    received timestamp NOT NULL,
    place bigint NOT NULL, -- in the file it was loaded from: the order within a second
    affid text NOT NULL, cid text NOT NULL, cliid text NOT NULL, xpoid text NOT NULL,
    prn text NOT NULL, pv text NOT NULL, sdkv text NOT NULL, rid bigint NOT NULL,
    struct_version integer NOT NULL, mode integer NOT NULL, os_major integer NOT NULL,
    os_minor integer NOT NULL, os_service integer NOT NULL, os_build integer NOT NULL,
    os_64_bit integer NOT NULL, vxcore_major integer NOT NULL, vxcore_minor integer NOT NULL,
    vxcore_patch integer NOT NULL, vxcore_build integer NOT NULL, vxcore_pkg integer NOT NULL,
    dat_major integer NOT NULL, dat_minor integer NOT NULL, vantor_major integer NOT NULL,
    vantor_minor integer NOT NULL, vantor_patch integer NOT NULL, vantor_build integer NOT NULL,
    throttle_mode integer NOT NULL, rep_communicator_major integer NOT NULL, rep_communicator_minor integer NOT NULL,
    rep_communicator_patch integer NOT NULL, rep_communicator_build integer NOT NULL, vxshield_mem_10mb integer NOT NULL,
    vxeatp_mem_10mb integer NOT NULL, bitfield_test_results numeric(20) NOT NULL, count integer NOT NULL,
    total_count integer NOT NULL, arch integer NOT NULL,
    bit_server boolean NOT NULL, bit_port boolean NOT NULL, bit_user boolean NOT NULL,
    bit_password boolean NOT NULL, bit_domain boolean NOT NULL, bit_principal boolean NOT NULL,
    bit_target boolean NOT NULL, bit_word boolean NOT NULL, bit_excel boolean NOT NULL,
    bit_msedge boolean NOT NULL, bit_chrome boolean NOT NULL, bit_outlook boolean NOT NULL,
    bit_vxshield boolean NOT NULL, bit_vxemms boolean NOT NULL, bit_vxtray boolean NOT NULL,
    bit_vxevtps boolean NOT NULL, bit_dat_update_ok boolean NOT NULL, bit_meltdown_compat boolean NOT NULL,
    bit_os_type boolean NOT NULL, bit_vxedisk_deleteFlag boolean NOT NULL, bit_vxedisk_deleteFlagError boolean NOT NULL,
    bit_vxedisk_startValue boolean NOT NULL, bit_vxedisk_startValueError boolean NOT NULL, bit_case_sensitivity_0 boolean NOT NULL,
    bit_case_sensitivity_1 boolean NOT NULL, bit_atp_enabled boolean NOT NULL, bit_atp_observe_mode_enabled boolean NOT NULL,
    bit_teams boolean NOT NULL, bit_ipv6 boolean NOT NULL,
    items text NOT NULL,
    PRIMARY KEY (cliid, rid, received)
) PARTITION BY RANGE (received);

-- Where a file is copied to before its pulses go to the partitions of their days.
CREATE TABLE incoming (LIKE pulse);

-- Wilson's score interval, 4.5 standard errors to either side.
CREATE FUNCTION wilson_low(hits bigint, tries bigint) RETURNS double precision LANGUAGE sql IMMUTABLE
RETURN CASE WHEN tries = 0 THEN 0 ELSE greatest(0, (hits + 4.5 ^ 2 / 2) / (tries + 4.5 ^ 2)
    - 4.5 / (tries + 4.5 ^ 2) * sqrt(hits * (tries - hits)::double precision / tries + 4.5 ^ 2 / 4)) END;

CREATE FUNCTION wilson_high(hits bigint, tries bigint) RETURNS double precision LANGUAGE sql IMMUTABLE
RETURN CASE WHEN tries = 0 THEN 1 ELSE least(1, (hits + 4.5 ^ 2 / 2) / (tries + 4.5 ^ 2)
    + 4.5 / (tries + 4.5 ^ 2) * sqrt(hits * (tries - hits)::double precision / tries + 4.5 ^ 2 / 4)) END;

CREATE FUNCTION share(hits bigint, tries bigint) RETURNS double precision LANGUAGE sql IMMUTABLE
RETURN CASE WHEN tries = 0 THEN 0 ELSE hits::double precision / tries END;

-- The pulses of hosts with a client id, with their versions in words.
CREATE VIEW fleet_pulse AS
SELECT pulse.*,
    received::date AS day,
    CASE mode WHEN 1 THEN 'predatupdate' WHEN 2 THEN 'postdatupdate' WHEN 3 THEN 'periodic' ELSE 'no known mode' END AS mode_name,
    concat_ws('.', vantor_major, vantor_minor, vantor_patch, vantor_build) AS program,
    CASE WHEN (vxcore_major, vxcore_minor, vxcore_patch, vxcore_build, vxcore_pkg) = (255, 255, 255, 65535, 255)
        THEN 'unknown' ELSE concat_ws('.', vxcore_major, vxcore_minor, vxcore_patch, vxcore_build) END AS engine,
    CASE WHEN 65535 IN (dat_major, dat_minor) THEN 'unknown' ELSE concat_ws('.', dat_major, dat_minor) END AS content,
    concat_ws('.', os_major, os_minor, os_build) AS windows,
    CASE arch WHEN 34404 THEN 'AMD64' WHEN 43620 THEN 'ARM64' WHEN 332 THEN 'x86' ELSE '0x' || lpad(to_hex(arch), 4, '0') END
        AS architecture
FROM pulse
WHERE cliid <> '';

-- Hosts and pulses by mode, day and version. Of values of which a host has but one, its latest pulse decides.
CREATE VIEW fleet_groups AS
SELECT kind, name, count(DISTINCT cliid) AS hosts, count(*) AS pulses
FROM fleet_pulse CROSS JOIN LATERAL (VALUES ('mode', mode_name), ('day', day::text)) AS counted (kind, name)
GROUP BY kind, name
UNION ALL
SELECT kind, name, count(*) FILTER (WHERE is_latest), count(*)
FROM (SELECT *, row_number() OVER (PARTITION BY cliid ORDER BY received DESC, place DESC) = 1 AS is_latest FROM fleet_pulse) AS pulses
CROSS JOIN LATERAL (VALUES ('program', program), ('engine', engine), ('content', content), ('windows', windows),
    ('architecture', architecture)) AS counted (kind, name)
GROUP BY kind, name;

-- Of how many hosts the latest pulse of all, and of each day, has each result bit.
CREATE VIEW fleet_bits AS
SELECT substr(key, 5) AS name, count(*) FILTER (WHERE value = 'true') AS hosts
FROM (SELECT DISTINCT ON (cliid) * FROM fleet_pulse ORDER BY cliid, received DESC, place DESC) AS latest
CROSS JOIN LATERAL jsonb_each(to_jsonb(latest))
WHERE key LIKE 'bit\_%'
GROUP BY key;

CREATE VIEW fleet_day_bits AS
SELECT day, substr(key, 5) AS name, count(*) FILTER (WHERE value = 'true') AS hosts
FROM (SELECT DISTINCT ON (cliid, day) * FROM fleet_pulse ORDER BY cliid, day, received DESC, place DESC) AS latest
CROSS JOIN LATERAL jsonb_each(to_jsonb(latest))
WHERE key LIKE 'bit\_%'
GROUP BY day, key;

-- Each pre-update pulse with the host's next post-update one, when that came within six hours, and those after which the host
-- sent nothing for a day. "told" is the version that the update went to; where no pulse tells it, "content" is the one that most
-- updates of the day went to.
CREATE VIEW fleet_attempts AS
WITH heard AS (
    SELECT p AS before, lead(received) OVER (PARTITION BY cliid ORDER BY received, place) AS heard_again FROM fleet_pulse AS p
), halves AS (
    SELECT before, heard_again,
        lead(before) OVER (PARTITION BY (before).cliid ORDER BY (before).received, (before).place) AS after
    FROM heard
    WHERE (before).mode IN (1, 2)
), attempts AS (
    SELECT before, after,
        coalesce((after).mode = 2 AND (after).received - (before).received <= interval '6 hours', false) AS is_pair,
        coalesce(heard_again, (SELECT max(received) FROM fleet_pulse)) - (before).received > interval '1 day' AS is_silent
    FROM halves
    WHERE (before).mode = 1
), targets AS (
    SELECT *, CASE WHEN is_pair AND (after).content <> 'unknown'
        AND ((after).bit_dat_update_ok OR (after).content <> (before).content) THEN (after).content END AS told
    FROM attempts
    WHERE is_pair OR is_silent
), days AS (
    SELECT DISTINCT ON ((before).day) (before).day AS day, told AS content
    FROM targets
    WHERE told IS NOT NULL
    GROUP BY (before).day, told, (after).dat_major, (after).dat_minor
    ORDER BY (before).day, count(*) DESC, (after).dat_major DESC, (after).dat_minor DESC
)
SELECT (before).cliid AS cliid, (before).received AS received, (before).place AS place, (before).day AS day,
    is_pair, told, coalesce(told, days.content, 'unknown') AS content,
    is_pair AND NOT (after).bit_dat_update_ok AS update_failed,
    is_pair AND (before).bit_vxshield AND NOT (after).bit_vxshield AS vxshield_gone,
    is_pair AND (before).bit_vxemms AND NOT (after).bit_vxemms AS vxemms_gone,
    is_pair AND (before).bit_vxtray AND NOT (after).bit_vxtray AS vxtray_gone,
    is_pair AND (before).bit_vxevtps AND NOT (after).bit_vxevtps AS vxevtps_gone,
    is_pair AND (before).bit_atp_enabled AND NOT (after).bit_atp_enabled AS atp_off,
    is_pair AND NOT (before).bit_vxedisk_deleteFlag AND (after).bit_vxedisk_deleteFlag AS delete_flag,
    is_pair AND NOT (before).bit_vxedisk_deleteFlagError AND (after).bit_vxedisk_deleteFlagError AS delete_flag_error,
    is_pair AND NOT (before).bit_vxedisk_startValue AND (after).bit_vxedisk_startValue AS start_value,
    is_pair AND NOT (before).bit_vxedisk_startValueError AND (after).bit_vxedisk_startValueError AS start_value_error,
    is_pair AND (before).vxshield_mem_10mb > 0 AND (after).vxshield_mem_10mb >= (before).vxshield_mem_10mb + 10
        AND 2 * (after).vxshield_mem_10mb >= 3 * (before).vxshield_mem_10mb AS vxshield_memory,
    is_pair AND (before).vxeatp_mem_10mb > 0 AND (after).vxeatp_mem_10mb >= (before).vxeatp_mem_10mb + 10
        AND 2 * (after).vxeatp_mem_10mb >= 3 * (before).vxeatp_mem_10mb AS vxeatp_memory,
    NOT is_pair AS silent,
    (before).vxshield_mem_10mb AS vxshield_before, (after).vxshield_mem_10mb AS vxshield_after,
    (before).vxeatp_mem_10mb AS vxeatp_before, (after).vxeatp_mem_10mb AS vxeatp_after
FROM targets LEFT JOIN days ON days.day = (before).day;

-- A host's attempts at one version in a row are one update.
CREATE VIEW fleet_updates AS
WITH marked AS (
    SELECT *, coalesce(told, day::text) AS target FROM fleet_attempts
), changes AS (
    SELECT *, (target IS DISTINCT FROM lag(target) OVER (PARTITION BY cliid ORDER BY received, place))::integer AS is_new FROM marked
), numbered AS (
    SELECT *, sum(is_new) OVER (PARTITION BY cliid ORDER BY received, place) AS number FROM changes
)
SELECT cliid, number, content, min(received) AS begun, bool_or(is_pair) AS is_pair,
    bool_or(update_failed) AS update_failed, bool_or(vxshield_gone) AS vxshield_gone, bool_or(vxemms_gone) AS vxemms_gone,
    bool_or(vxtray_gone) AS vxtray_gone, bool_or(vxevtps_gone) AS vxevtps_gone, bool_or(atp_off) AS atp_off,
    bool_or(delete_flag) AS delete_flag, bool_or(delete_flag_error) AS delete_flag_error, bool_or(start_value) AS start_value,
    bool_or(start_value_error) AS start_value_error, bool_or(vxshield_memory) AS vxshield_memory,
    bool_or(vxeatp_memory) AS vxeatp_memory, bool_or(silent) AS silent
FROM numbered
GROUP BY cliid, number, content;

-- What got worse after the updates to each content version, beside the updates to all others.
CREATE VIEW fleet_harms AS
WITH counted AS (
    SELECT content, harm, count(*) FILTER (WHERE is_harmed) AS updates, count(*) FILTER (WHERE is_tried) AS tries
    FROM fleet_updates CROSS JOIN LATERAL (VALUES
        ('update_failed', update_failed, is_pair), ('vxshield_gone', vxshield_gone, is_pair), ('vxemms_gone', vxemms_gone, is_pair),
        ('vxtray_gone', vxtray_gone, is_pair), ('vxevtps_gone', vxevtps_gone, is_pair), ('atp_off', atp_off, is_pair),
        ('delete_flag', delete_flag, is_pair), ('delete_flag_error', delete_flag_error, is_pair),
        ('start_value', start_value, is_pair), ('start_value_error', start_value_error, is_pair),
        ('vxshield_memory', vxshield_memory, is_pair), ('vxeatp_memory', vxeatp_memory, is_pair), ('silent', silent, true)
    ) AS harms (harm, is_harmed, is_tried)
    GROUP BY content, harm
), compared AS (
    SELECT *, (sum(updates) OVER (PARTITION BY harm))::bigint - updates AS other_updates,
        (sum(tries) OVER (PARTITION BY harm))::bigint - tries AS other_tries
    FROM counted
)
SELECT content, harm, updates, tries AS of,
    share(updates, tries) AS rate, wilson_low(updates, tries) AS low, wilson_high(updates, tries) AS high,
    share(other_updates, other_tries) AS others_rate, wilson_high(other_updates, other_tries) AS others_high,
    updates >= 10 AND wilson_low(updates, tries) > wilson_high(other_updates, other_tries) AS stands_out
FROM compared;

-- Mean working sets in MiB before and after the updates for which both are known.
CREATE VIEW fleet_memory AS
SELECT content, process, count(*) AS updates, 10 * avg(before) AS before_mib, 10 * avg(after) AS after_mib
FROM fleet_attempts CROSS JOIN LATERAL (VALUES
    ('vxshield', vxshield_before, vxshield_after), ('vxeatp', vxeatp_before, vxeatp_after)) AS sizes (process, before, after)
WHERE is_pair AND before > 0 AND after > 0
GROUP BY content, process;
