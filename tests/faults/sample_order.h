#pragma once

#include "orders.h"

/// A document of the purchase order example, whose classes use values, facets, objects and collections.
namespace Quillon9::Testing {

inline constexpr char kOrder[] =
    "<?xml version='1.0'?>\n"
    "<purchaseOrder orderDate='2024-03-18'>\n"
    "<shipTo country='US'><name>Zo&#xEB; Fern&#xE1;ndez</name><street>2210 Boulevard of the Broken Dreams</street>"
    "<city>Denver</city><state>CO</state><zip>80249</zip></shipTo>"
    "<comment>Please ring twice; the dog &lt;Bello&gt; doesn't bite.</comment>\n"
    "<items><item partNum='417-LM'><productName>Lawn mower, 42 cm</productName><quantity>1</quantity>"
    "<USPrice>189.90</USPrice><shipDate>2024-03-25</shipDate><serial>LM42-0007731</serial>"
    "<serial>LM42-0007732</serial></item>\n"
    "<item partNum='203-TW'><productName>Trowel</productName><quantity>3</quantity><USPrice>12.50</USPrice></item>"
    "</items></purchaseOrder>";

inline CSmartPtr<Orders::CPurchaseOrderType> NewOrder() { return Orders::ReadPurchaseOrder(XmlText(kOrder)); }

}  // namespace Quillon9::Testing
