-- Facts that hold now and are less: as numbers where both are, else in natural order, by their key. Beside a number,
-- natural order is for what begins with a digit: 15.0.18 beside 15.
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
    WHEN '' THEN coalesce(value.sorted, value.text) < {sorted}
    ELSE CASE WHEN value.number IS NOT NULL THEN value.number < CAST({number} AS REAL)
      ELSE value.text GLOB '[0-9]*' AND coalesce(value.sorted, value.text) < {sorted} END
  END
ORDER BY host.name, place.text;
