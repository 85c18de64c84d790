-- The values that hold now at a pointer, on how many hosts, and in how many facts.
WITH wanted AS (
  SELECT id FROM place WHERE pointer = {pointer} AND text GLOB {glob}
  UNION ALL
  SELECT id FROM place WHERE {pointer} = '*'
), shown AS (
  SELECT host, text FROM present JOIN value ON value.id = present.value WHERE place IN wanted
  UNION ALL
  SELECT host, text FROM latest WHERE place IN wanted
)
SELECT text, count(DISTINCT host) AS hosts, count(*)
FROM shown
GROUP BY text
ORDER BY hosts DESC, text;
