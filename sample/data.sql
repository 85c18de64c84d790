-- Generated rows, the same in every sample: what looks random is arithmetic on the row's number.

INSERT INTO countries VALUES
  ('AT', 'Österreich'), ('CH', 'Schweiz'), ('CZ', 'Česko'), ('DE', 'Deutschland'), ('DK', 'Danmark'),
  ('ES', 'España'), ('FI', 'Suomi'), ('FR', 'France'), ('GB', 'United Kingdom'), ('GR', 'Ελλάδα'),
  ('IT', 'Italia'), ('JP', '日本'), ('NO', 'Norge'), ('PL', 'Polska'), ('PT', 'Portugal'),
  ('SE', 'Sverige'), ('UA', 'Україна'), ('US', 'United States');

CREATE TEMP TABLE word(kind TEXT, n INTEGER, text TEXT, country TEXT, PRIMARY KEY (kind, n));
INSERT INTO word VALUES
  ('given', 0, 'Anna', NULL), ('given', 1, 'Björn', NULL), ('given', 2, 'Chloé', NULL),
  ('given', 3, 'Dmytro', NULL), ('given', 4, 'Eleni', NULL), ('given', 5, 'François', NULL),
  ('given', 6, 'Grażyna', NULL), ('given', 7, 'Haruki', NULL), ('given', 8, 'Íñigo', NULL),
  ('given', 9, 'Jürgen', NULL), ('given', 10, 'Kateřina', NULL), ('given', 11, 'Lars', NULL),
  ('family', 0, 'Ångström', NULL), ('family', 1, 'Bianchi', NULL), ('family', 2, 'Çelik', NULL),
  ('family', 3, 'Dvořák', NULL), ('family', 4, 'Evans', NULL), ('family', 5, 'Fernández', NULL),
  ('family', 6, 'Groß', NULL), ('family', 7, 'Hämäläinen', NULL), ('family', 8, 'Ito', NULL),
  ('family', 9, 'Jørgensen', NULL), ('family', 10, 'Kowalczyk', NULL), ('family', 11, 'Le Goff', NULL),
  ('family', 12, 'O''Neill', NULL),
  ('city', 0, 'Wien', 'AT'), ('city', 1, 'Zürich', 'CH'), ('city', 2, 'Plzeň', 'CZ'),
  ('city', 3, 'Köln', 'DE'), ('city', 4, 'München', 'DE'), ('city', 5, 'Århus', 'DK'),
  ('city', 6, 'A Coruña', 'ES'), ('city', 7, 'Jyväskylä', 'FI'), ('city', 8, 'Besançon', 'FR'),
  ('city', 9, 'Leeds', 'GB'), ('city', 10, 'Αθήνα', 'GR'), ('city', 11, 'Forlì', 'IT'),
  ('city', 12, '京都', 'JP'), ('city', 13, 'Tromsø', 'NO'), ('city', 14, 'Łódź', 'PL'),
  ('city', 15, 'Setúbal', 'PT'), ('city', 16, 'Malmö', 'SE'), ('city', 17, 'Львів', 'UA'),
  ('city', 18, 'Portland', 'US'),
  ('thing', 0, 'lamp', 'Lighting'), ('thing', 1, 'chair', 'Furniture'), ('thing', 2, 'desk', 'Furniture'),
  ('thing', 3, 'kettle', 'Kitchen'), ('thing', 4, 'teapot', 'Kitchen'), ('thing', 5, 'shelf', 'Furniture'),
  ('thing', 6, 'clock', 'Décor'), ('thing', 7, 'rug', 'Décor'), ('thing', 8, 'torch', 'Lighting'),
  ('make', 0, 'Oak', NULL), ('make', 1, 'Steel', NULL), ('make', 2, 'Glass', NULL), ('make', 3, 'Linen', NULL),
  ('make', 4, 'Copper', NULL), ('make', 5, 'Walnut', NULL), ('make', 6, 'Bamboo', NULL),
  ('make', 7, 'Enamel', NULL), ('make', 8, 'Crème', NULL), ('make', 9, 'Cork', NULL), ('make', 10, 'Slate', NULL),
  ('make', 11, 'Brass', NULL), ('make', 12, 'Ash', NULL), ('make', 13, 'Marble', NULL);

INSERT INTO suppliers(id, name, country, email, rating)
  WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 25)
  SELECT i, f.text || ' & ' || g.text || ' ' || i, c.country,
         CASE WHEN i % 6 <> 0 THEN 'sales' || i || '@supplier.example' END,
         CASE WHEN i % 4 <> 0 THEN i * 37 % 51 / 10.0 END
  FROM n JOIN word AS f ON f.kind = 'family' AND f.n = i % 13
         JOIN word AS g ON g.kind = 'family' AND g.n = i * 5 % 13
         JOIN word AS c ON c.kind = 'city' AND c.n = i * 7 % 19;

INSERT INTO products(id, supplier_id, name, category, price, tax_rate, datasheet, picture, discontinued)
  WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 126)
  SELECT i, 1 + i * 11 % 25, m.text || ' ' || t.text, t.country, 4.5 + i * 7919 % 40000 / 100.0,
         CASE i % 5 WHEN 0 THEN 0.07 ELSE 0.19 END,
         CASE WHEN i % 3 = 0 THEN '<sheet><material>' || m.text || '</material></sheet>' END,
         CASE WHEN i % 10 = 0 THEN zeroblob(600 + i * 40) END, i % 17 = 0
  FROM n JOIN word AS m ON m.kind = 'make' AND m.n = i % 14
         JOIN word AS t ON t.kind = 'thing' AND t.n = i % 9;

INSERT INTO employees(id, manager_id, name, title, hired, retired, salary)
  WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 40)
  SELECT i, CASE WHEN i > 1 THEN i / 4 + (i < 4) END, g.text || ' ' || f.text,
         CASE WHEN i = 1 THEN 'Managing director' WHEN i < 11 THEN 'Team lead' ELSE 'Sales representative' END,
         date('2005-01-01', '+' || (i * 137) || ' days'), CASE WHEN i % 13 = 0 THEN '2023-12-31' END,
         90000 - i * 1100
  FROM n JOIN word AS g ON g.kind = 'given' AND g.n = i % 12
         JOIN word AS f ON f.kind = 'family' AND f.n = i * 3 % 13;

INSERT INTO customers(name, email, phone, city, country, since, notes)
  WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 400)
  SELECT g.text || ' ' || f.text, CASE WHEN i % 8 <> 0 THEN 'Customer' || i || '@mail.example' END,
         CASE WHEN i % 3 <> 0 THEN printf('+%d %07d', 30 + i % 60, i * 7717) END, c.text, c.country,
         date('2012-03-01', '+' || (i * 9) || ' days'),
         CASE WHEN i % 20 = 0 THEN 'Prefers delivery in the morning; pays by invoice – 30 Tage netto.' END
  FROM n JOIN word AS g ON g.kind = 'given' AND g.n = i * 5 % 12
         JOIN word AS f ON f.kind = 'family' AND f.n = i * 7 % 13
         JOIN word AS c ON c.kind = 'city' AND c.n = i * 11 % 19;

INSERT INTO orders(customer_id, employee_id, ordered, shipped, status)
  WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 2400)
  SELECT 1 + i * 7919 % 400, CASE WHEN i % 9 <> 0 THEN 11 + i * 13 % 30 END,
         datetime('2021-01-04 08:00:00', '+' || (i * 1013) || ' minutes'),
         CASE WHEN i % 31 <> 0 AND i < 2340 THEN datetime('2021-01-06 10:00:00', '+' || (i * 1013) || ' minutes') END,
         CASE WHEN i % 31 = 0 THEN 'C' WHEN i < 2340 THEN 'S' WHEN i < 2380 THEN 'P' ELSE 'N' END
  FROM n;

INSERT INTO order_lines(order_id, line, product_id, quantity, unit_price)
  WITH RECURSIVE line(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM line WHERE i < 5)
  SELECT o.id, i, p.id, 1 + (o.id + i) * 7 % 6, p.price
  FROM orders AS o JOIN line ON i <= 1 + o.id * 3 % 5 JOIN products AS p ON p.id = 1 + (o.id * 17 + i * 29) % 126;

INSERT INTO stock(warehouse, product_id, quantity, counted)
  SELECT w.column1, p.id, p.id * w.column2 % 240, CASE WHEN p.id % 4 <> 0 THEN '2024-01-02 06:30:00' END
  FROM products AS p, (VALUES ('Nord', 37), ('Süd', 53), ('Übersee', 71)) AS w;

ANALYZE;

-- Younger than the statistics, as tables sometimes are.
CREATE TABLE order_imports(
  received TIMESTAMP NOT NULL,
  payload JSON
);
