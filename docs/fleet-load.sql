-- Takes what was copied to "incoming" into "pulse", for psql: makes the partitions of days that have none yet, one a day, each in
-- four pieces by client id. Pulses that are there already are passed over, so a file may be loaded twice.
SELECT format('CREATE TABLE IF NOT EXISTS pulse_%1$s PARTITION OF pulse FOR VALUES FROM (%2$L) TO (%3$L) PARTITION BY HASH (cliid)',
    to_char(day, 'YYYYMMDD'), day, day + 1)
FROM (SELECT DISTINCT received::date AS day FROM incoming) AS days ORDER BY day \gexec
SELECT format('CREATE TABLE IF NOT EXISTS pulse_%1$s_%2$s PARTITION OF pulse_%1$s FOR VALUES WITH (MODULUS 4, REMAINDER %2$s)',
    to_char(day, 'YYYYMMDD'), piece)
FROM (SELECT DISTINCT received::date AS day FROM incoming) AS days, generate_series(0, 3) AS piece ORDER BY day, piece \gexec
INSERT INTO pulse SELECT * FROM incoming ON CONFLICT DO NOTHING;
TRUNCATE incoming;
ANALYZE pulse;
