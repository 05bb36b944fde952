-- What the views say, a line a number or a row of them, shares in units of a ten-millionth.
COPY (
    SELECT concat_ws(' ', 'group', kind, name, hosts, pulses) FROM fleet_groups
    UNION ALL SELECT concat_ws(' ', 'bit', name, hosts) FROM fleet_bits
    UNION ALL SELECT concat_ws(' ', 'bit', day, name, hosts) FROM fleet_day_bits
    UNION ALL SELECT concat_ws(' ', 'harm', content, harm, updates, of, round(rate * 1e7), round(low * 1e7), round(high * 1e7),
        round(others_rate * 1e7), round(others_high * 1e7), stands_out::text) FROM fleet_harms
    UNION ALL SELECT concat_ws(' ', 'memory', content, process, updates, round(before_mib * 1000), round(after_mib * 1000))
        FROM fleet_memory
) TO STDOUT;
