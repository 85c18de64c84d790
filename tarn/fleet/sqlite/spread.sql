-- The values that hold now at a pointer, on how many hosts, and in how many facts.
WITH wanted AS (
  SELECT id FROM place WHERE pointer = {pointer} AND text GLOB {glob}
  UNION ALL
  SELECT id FROM place WHERE {pointer} = '*'
), present AS (
  -- The newest row of each host and place. SQLite takes the other columns from the row that max() found.
  SELECT host, value, max(since) FROM fact WHERE place IN wanted GROUP BY place, host
  UNION ALL
  SELECT host, value, since FROM latest WHERE place IN wanted
), shown AS (
  SELECT value.text, host FROM present JOIN value ON value.id = present.value  -- a fact that went away has none
)
SELECT text, count(DISTINCT host) AS hosts, count(*)
FROM shown
GROUP BY text
ORDER BY hosts DESC, text;
