-- Facts that hold now and are greater: as numbers when a number is asked for, else in natural order, by their key.
WITH wanted AS (
  SELECT id FROM place WHERE pointer = {pointer} AND text GLOB {glob}
  UNION ALL
  SELECT id FROM place WHERE {pointer} = '*'
), present AS (
  -- The newest row of each host and place. SQLite takes the other columns from the row that max() found.
  SELECT host, place, value, max(since) FROM fact WHERE place IN wanted GROUP BY place, host
  UNION ALL
  SELECT host, place, value, since FROM latest WHERE place IN wanted
)
SELECT host.name, place.text, value.text
FROM present
JOIN value ON value.id = present.value  -- a fact that went away has none
JOIN host ON host.id = present.host
JOIN place ON place.id = present.place
WHERE CASE {number}
    WHEN '' THEN coalesce(value.sorted, value.text) > {sorted}
    ELSE value.number > CAST({number} AS REAL)
  END
ORDER BY host.name, place.text;
